struct struct A {}
func func f() {}
let b = 1
