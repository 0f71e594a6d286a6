corvellan_fuzz(ServerMsg LINK Corvellan::Models)
