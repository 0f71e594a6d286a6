corvellan_fuzz(ClientMsg LINK Corvellan::Models)
