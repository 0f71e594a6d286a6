# The peer is the least that any client must do: base64 and a text frame, on one thread.
corvellan_benchmark(SttService LINK Corvellan::Services Qt6::WebSockets)
