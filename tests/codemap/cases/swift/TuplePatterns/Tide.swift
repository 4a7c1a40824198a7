let (a, b) = (1, 2)
let (c, (d, _), e: f) = nested()
var (g, h): (Int, Int) = (1, 2), i = 3
struct S {
    static let (x, y) = pair()
}
