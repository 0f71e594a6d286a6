# The peers: the JPEG library itself without our way to it, Qt's own smooth scaler, and a copy of the frame's bytes,
# which is what memory alone allows.
pkg_check_modules(turbojpeg REQUIRED IMPORTED_TARGET libturbojpeg)
corvellan_benchmark(ScreenShare LINK Corvellan::ScreenShareService Qt6::Gui PkgConfig::turbojpeg)
