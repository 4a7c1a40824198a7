enum Tide { case low; case high }
enum Sea { case calm, rough }
