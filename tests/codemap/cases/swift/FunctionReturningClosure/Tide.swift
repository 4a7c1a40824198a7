func a() -> () -> Int { { 1 } }
func b() -> (Int) -> Void { return { c in d(c) } }
