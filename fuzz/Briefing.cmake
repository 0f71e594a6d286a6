corvellan_fuzz(Briefing LINK Corvellan::Models)
