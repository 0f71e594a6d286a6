corvellan_fuzz(AutostartEntry LINK Corvellan::LinuxPermissions)
