corvellan_fuzz(SessionRecord LINK Corvellan::Models)
