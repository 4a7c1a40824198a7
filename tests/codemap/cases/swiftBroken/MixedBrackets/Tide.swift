func f() { g(x[1)] }
let a = (1, 2]
let b = 1
