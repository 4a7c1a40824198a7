func pair() -> (first: Int, second: String) { (1, "") }
func nothing() -> () {}
func twice() -> (Int) -> (Int) -> Int { { a in { b in a + b } } }
