# The peer is SQLite itself on the same file, through its own C interface.
corvellan_benchmark(SessionStore LINK Corvellan::SessionStore Corvellan::History SQLiteCpp SQLite::SQLite3)
