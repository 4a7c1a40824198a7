class A {
    lazy var b = { [unowned self] in self.c }()
    lazy var d: () -> Void = { [weak self] in
        guard let self else { return }
        let e = self
    }
    var f = 1
}
