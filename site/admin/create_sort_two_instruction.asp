<%@ Component="Ostrakan.Class57" %><% InitFunction1 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>生成HTML</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>生成HTML - 生成选中的二级分类</h3>
<% InitFunction2 %>
</body>
</html>
