corvellan_fuzz(UpdateFeed LINK Corvellan::Shell)
