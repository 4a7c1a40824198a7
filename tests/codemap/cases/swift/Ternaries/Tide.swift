let a = b ? c : d
let e = b
    ? { 1 }()
    : { 2 }()
let f: Int? = b ? nil : 1
let g = 1
