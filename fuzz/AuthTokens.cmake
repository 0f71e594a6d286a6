corvellan_fuzz(AuthTokens LINK Corvellan::Models)
