let a = "\\\\"
let b = "\\\" {"
let c = "\u{1F600}"
