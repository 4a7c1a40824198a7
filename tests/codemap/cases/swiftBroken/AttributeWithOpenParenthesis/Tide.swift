@available(iOS 13
func f() {}
let a = 1
