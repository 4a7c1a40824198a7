struct Tide {
    let a = Map<Int, String>(), b = 2
    let c: Map<Int, [String]> = [:], d: Int = 1
    let e = Map<Int, Set<Int>>(x: 1), f: Int
    let g = h < i, j = 2
}
