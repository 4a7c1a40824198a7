let a = b / c + d / "{".count
let e = (f) / g / h
func i() { let x = y / 2; let z = w /2; print("/") }
let j = k[0] / l
let m = 1
