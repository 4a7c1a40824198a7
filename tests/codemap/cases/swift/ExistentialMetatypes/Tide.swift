let a: any P.Type = B.self
let b: (any P & Q)? = nil
func f(x: any P, y: some Q) -> any R { x }
