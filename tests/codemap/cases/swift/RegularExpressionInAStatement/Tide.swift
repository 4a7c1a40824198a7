func f() {
    if text.contains(/}/) { return }
    let a = try /"{/.firstMatch(in: b)
    switch c { case /}/: break }
}
let g = 1
