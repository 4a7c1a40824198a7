#Preview("Dark", traits: .landscapeLeft) {
    ContentView(value: { 1 }())
}

#Preview {
    @Previewable @State var hidden = 1
    func alsoHidden() {}
    return ContentView()
}

struct ContentView {}
