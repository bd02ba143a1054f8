<%@ Component="Ostrakan.Class27" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>生成HTML</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>生成HTML - 生成选中的一级分类</h3>
<% InitFunction3 %>
</body>
</html>
