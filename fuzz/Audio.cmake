corvellan_fuzz(AudioBuffers LINK Corvellan::Audio)
