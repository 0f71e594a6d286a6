corvellan_fuzz(CallbackRequest LINK Corvellan::AuthService)
