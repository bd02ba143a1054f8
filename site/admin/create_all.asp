<%@ Component="Ostrakan.Class21" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>生成全站</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>生成HTML - 生成全站</h3>
<form accept-charset="gb18030" name="start" method="get" action="create_all_instruction.asp">
<table class="form">
<tr><th>全站生成：</th><td><input type="submit" value="开始生成" class="button"> <span class="hint">为每个一级分类和每个二级分类各生成一个页面。</span></td></tr>
</table>
</form>
</body>
</html>
