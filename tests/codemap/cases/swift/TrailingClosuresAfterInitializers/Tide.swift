class Tide {
    let a = Button("x") { let b = 1 } label: { let c = 2 }
    let d = items.map { $0 }.filter { $0 > 1 }
        .sorted { $0 < $1 }
        .first
    let e = 1
}
