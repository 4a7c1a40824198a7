func a1() {}
func b2c(d3: Int) {}
