func a() {}; func b() {}
func c() { d() } ; let e = 1
