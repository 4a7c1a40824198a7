struct TideScreen: View {
    var body: some View {
        VStack {
            if let tide = tide {
                Text("\(tide.name)")
            } else {
                let other = 1
                ForEach(0..<other) { i in Text("}") }
            }
        }
        .padding()
    }
    @ViewBuilder private var header: some View { Text("a") }
    @ViewBuilder
    func footer(@ViewBuilder _ content: () -> some View) -> some View { content() }
}
