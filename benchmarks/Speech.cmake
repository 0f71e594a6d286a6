# The peer searches the text so far anew for each token.
corvellan_benchmark(Speech LINK Corvellan::SpeechService)
