let a = "/* not a comment"
let b = "// neither"
let c = "*/"
let d = "http://example.org" // but this
