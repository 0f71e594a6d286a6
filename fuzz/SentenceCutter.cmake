corvellan_fuzz(SentenceCutter LINK Corvellan::SpeechService)
