outer: for i in 0..<3 {
    let a = i
}
let b = 1
