corvellan_fuzz(SttFrame LINK Corvellan::Services)
