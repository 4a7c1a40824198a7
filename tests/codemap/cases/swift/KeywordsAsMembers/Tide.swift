let a = b.class.protocol.init(x: 1)
let c = d.self
let e = .func
let f = g.any

func h() {}
