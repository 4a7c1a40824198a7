infix operator /~
infix operator ~/
func /~ (a: Int, b: Int) -> Int { a / b }
func /= (a: inout Int, b: Int) { a = a / b }
