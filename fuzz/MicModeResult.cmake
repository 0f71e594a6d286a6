corvellan_fuzz(MicModeResult LINK Corvellan::Audio)
