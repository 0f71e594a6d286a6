# The peers resample the same second of audio; a plain copy of its bytes is what memory alone allows.
pkg_check_modules(samplerate REQUIRED IMPORTED_TARGET samplerate)
corvellan_benchmark(Audio LINK Corvellan::Audio PkgConfig::samplerate PkgConfig::soxr)
