@Outer<Float>.Builder var first: Int {
    1
}

@Outer<Float>.Generic<Int> var second: Int {
    2
}

struct View {
    @Wrapper<[String]> var names
    @Module.Wrapper<Int>(wrappedValue: 1) var number: Int
}
