class Tide {
    var height = 0 {
        willSet { let a = 1 }
        didSet(old) {
            func local() {}
        }
    }
    var level: Int = 3 { didSet { update() } }
    var next: Int
}
