let a = { $0 + $1 }
struct A { var $b: Int; let _c = 1, __d = 2 }
