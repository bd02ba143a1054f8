<%@ Component="Ostrakan.Class50" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
</head>
<body>
<% InitFunction3 %>
</body>
</html>
