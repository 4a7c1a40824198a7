var a = 1
a = 2; a += 3
_ = a
(a, _) = (1, 2)
a.b.c = { let d = 1 }
let e = a
    + 2
let f = 1
