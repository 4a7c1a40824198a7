let macro = 1
macro.run()
func macro(macro: Int) {}
