[Navrel]
title=Navrel, an Xcode project on phones and tablets
description=Browsers on this network reach Navrel here, where browser access is set to "network".
ports=2346/tcp
