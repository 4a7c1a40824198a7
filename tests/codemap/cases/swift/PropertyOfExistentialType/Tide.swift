struct A {
    let b: any B & C
    let d: [any B]
    var e: (any B)?
    let f: some Collection<Int> = [1]
}
