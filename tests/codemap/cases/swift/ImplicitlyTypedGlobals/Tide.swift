let names = ["a", "b"], count = names.count
let (x, _) = (1, 2), z = 3
var empty: [Int] = .init()
