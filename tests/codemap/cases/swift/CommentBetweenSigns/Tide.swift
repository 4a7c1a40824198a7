let a = 1 /* + */ + /* - */ 2
let b = c//d
let e = f /* x */
