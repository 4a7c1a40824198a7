let a = "# not #\"raw\"#"
let b = "#if {"
