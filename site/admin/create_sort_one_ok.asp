<%@ Component="Ostrakan.Class26" %><% id = Request("id") %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="generator"><% InitFunction3 %></body>
</html>
