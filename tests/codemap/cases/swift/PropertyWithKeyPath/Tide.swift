struct A {
    let b = \A.c, d = \[Int].count
    let e: (A) -> Int = \.f
}
