corvellan_fuzz(HyprlandReply LINK Corvellan::LinuxCaptureHiding)
