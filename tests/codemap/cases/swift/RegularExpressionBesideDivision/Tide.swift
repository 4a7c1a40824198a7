let a = b/c, d = "/"
let e = (f/g)/h
let i = /j"/
let k = 1
