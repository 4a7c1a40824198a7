let a = [1, 2
func b() {}
