corvellan_fuzz(CallScript LINK Corvellan::Sandbox)
corvellan_fuzz(Customers LINK Corvellan::Sandbox)
corvellan_fuzz(ProviderRequest LINK Corvellan::Sandbox)
corvellan_fuzz(SandboxState LINK Corvellan::Sandbox)
