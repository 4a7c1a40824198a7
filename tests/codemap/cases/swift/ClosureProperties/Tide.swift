class Tide {
    let view: View = {
        let label = Label()
        func setUp() {}
        return label
    }()
    var done: (Int) -> Void = { _ in }
    lazy var table = Table { row in
        let cell = row
    }
    var after = 1
}
