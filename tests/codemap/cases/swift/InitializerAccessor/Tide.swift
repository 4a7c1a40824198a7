struct A {
    var b: Int {
        @storageRestrictions(initializes: c)
        init(d) { c = d }
        get { c }
    }
    var c: Int
}
