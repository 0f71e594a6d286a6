corvellan_fuzz(Markdown LINK Corvellan::Markdown)
