struct A {
    let a: (Int, String) = (1, "")
    var b: (x: Int, y: Int)
    let (c, d): (Int, Int) = (1, 2)
}
