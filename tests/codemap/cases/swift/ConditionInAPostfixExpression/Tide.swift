struct A: View {
    var body: some View {
        Text("a")
        #if os(iOS)
            .bold()
        #endif
    }
    let b = Text("x")
        #if os(iOS)
        .bold()
        #endif
    let c = 1
}
