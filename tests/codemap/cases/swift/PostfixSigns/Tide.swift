struct A {
    let a = b!
    let c = d?
        .e
    var f: Int!
    var g: Int?
    let h = i as! Int
    let j = k...
    let l = 1
}
