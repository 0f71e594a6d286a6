corvellan_fuzz(ServerCalls LINK Corvellan::Models)
