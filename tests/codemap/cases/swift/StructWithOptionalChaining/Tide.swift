struct A {
    let a = b?.c?[0]?.d ?? e
    let f = g!.h!
    let i: Int?? = nil
}
