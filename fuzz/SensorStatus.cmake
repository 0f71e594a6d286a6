corvellan_fuzz(SensorStatus LINK Corvellan::Models)
