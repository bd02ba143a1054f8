<%@ Component="Ostrakan.Class181" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>导入采集规则</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>导入采集规则 - 预览</h3>
<% InitFunction3 %>
<p><a href="<% InitFunction4 %>">返回规则列表</a></p>
</body>
</html>
