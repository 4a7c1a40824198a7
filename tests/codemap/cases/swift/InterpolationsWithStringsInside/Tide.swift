let a = "x \(b ? "y \(c ? "z" : "{")" : "}") w"
func f() {}
