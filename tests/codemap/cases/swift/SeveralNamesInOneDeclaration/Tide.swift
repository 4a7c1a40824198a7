struct Tide {
    var x = 0, y = 0
    let a: Int, b: String,
        c: Double
    var p, q, r: Int
    var d = f(1, 2), e = [1, 2], g = { 1 }()
}
