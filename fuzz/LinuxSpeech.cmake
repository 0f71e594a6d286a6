corvellan_fuzz(DaemonVoices LINK Corvellan::LinuxSpeech)
corvellan_fuzz(EspeakVoices LINK Corvellan::LinuxSpeech)
corvellan_fuzz(SpokenSound LINK Corvellan::LinuxSpeech)
