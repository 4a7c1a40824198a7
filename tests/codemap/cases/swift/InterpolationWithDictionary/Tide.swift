let text = "\(["a": "}"]["a"]!) \(f(x: "(", y: ")"))"
let next = 1
