corvellan_fuzz(X11Picture LINK Corvellan::LinuxScreenshots)
