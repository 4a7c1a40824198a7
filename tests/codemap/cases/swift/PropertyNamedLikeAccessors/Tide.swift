struct A {
    var get: Int, set: Int
    let willSet = 1, didSet = 2
    var async: Bool { true }
    let `throws` = 1
}
